# Turns the comments of a public header into Doxygen's form. The header stays prose for who reads it in an editor:
#   - a block of // above a declaration describes it, and those below it up to an empty line or the next comment
#   - // behind a declaration describes that one
#   - `// --- Title ---` begins a group of members, which the lines below it describe
#   - indented lines are layouts and lists, and are kept as they are
#   - what Doxygen would take for markup is escaped
# Destructors, copies and using-declarations, which say nothing of their own, are left out.

function escaped(text) {
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  gsub(/>/, "\\&gt;", text)
  gsub(/[@#]/, "\\\\&", text)
  gsub(/%/, "%%", text)
  return text
}

# The block as Doxygen's, laid-out lines as they are. A title stands in its first line.
function documented(title,    i, isLayout, isLaidOut, result) {
  result = title ? "/** @name " title "\n" : "/**\n"
  for (i = title ? 2 : 1; i <= count; ++i) {
    isLayout = block[i] ~ /^ /
    if (isLayout != isLaidOut && block[i] != "") {
      isLaidOut = isLayout
      result = result (isLaidOut ? "@verbatim" : "@endverbatim") "\n"
    }
    result = result (isLaidOut ? block[i] : escaped(block[i])) "\n"
  }
  return result (isLaidOut ? "@endverbatim\n" : "") "*/\n"
}

function endGroup() {
  if (isGroup) print "/// @}"
  isGroup = 0
}

function beginGroup() {
  endGroup()
  gsub(/^--- | ---$/, "", block[1])
  printf "%s/// @{\n", documented(block[1])
  isGroup = 1
}

/^ *\/\// {
  if (!isBlock) count = 0
  isBlock = 1
  sub(/^ *\/\/ ?/, "")
  block[++count] = $0
  next
}
isBlock && block[1] ~ /^---/ {
  beginGroup()
  count = 0
}
{ isBlock = 0 }
/^ *$/ { count = isContinued = 0 }
/^ *(private:|protected:|};)/ { endGroup() }
/~|^ *using .*operator=|^ *using .*::Import;|\(const [A-Za-z]+&\)( noexcept)? = d|operator=\(const/ {
  isLeftOut = /\{$/
  next
}
isLeftOut {
  isLeftOut = !/^ *\}$/
  next
}
/^ *(#|}|public:|private:|protected:|$)/ {
  print
  next
}
{
  if (!isContinued && count > 0 && $0 !~ /  \/\/ /) printf "%s", documented("")
  behind = index($0, "  // ")
  if (behind) $0 = substr($0, 1, behind + 1) "///< " escaped(substr($0, behind + 5))
  print
  isContinued = $0 !~ /[;{}]( *\/\/\/< .*)?$/
  if ($0 ~ /\{$/) count = 0  # what is inside is something else
}
