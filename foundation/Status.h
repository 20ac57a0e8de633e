#ifndef CLIPPARSER_FOUNDATION_STATUS_H
#define CLIPPARSER_FOUNDATION_STATUS_H

// The status values of the library. Each operation's header says which of them it returns and what they mean there.

// Done; every output holds its value.
constexpr unsigned int kStatusOK = 0;

// A setter of the body partition array refused its arguments and changed nothing.
constexpr unsigned int kStatusRefused = 1;

// Nothing to work on: an empty stream, object or buffer, a file that cannot be opened, a UMID of a wrong length.
constexpr unsigned int kStatusNoInput = 0x00130001;

// A local set's value could not be copied into memory.
constexpr unsigned int kStatusNoCopy = 0x00130002;

// Something could not be read, found or decoded.
constexpr unsigned int kStatusUnreadable = 0x00131001;

// Memory for the block cache pool could not be had.
constexpr unsigned int kStatusNoMemory = 0x00140002;

// The steps that read packets and open a clip look at the low half of a status only; a status such as 0x00130000
// counts as success there. Everyone else compares the whole value with kStatusOK.
constexpr bool isLowHalfOK(unsigned int status) { return (status & 0xFFFFu) == 0; }

// One line for people; never empty.
constexpr const char* StatusText(unsigned int status) {
  struct Row {
    unsigned int status;
    const char* text;
  };
  constexpr Row kRows[] = {
      {kStatusOK, "done"},
      {kStatusRefused, "the arguments were refused"},
      {kStatusNoInput, "nothing to work on"},
      {kStatusNoCopy, "a local set could not be copied into memory"},
      {kStatusUnreadable, "could not be read, found or decoded"},
      {kStatusNoMemory, "no memory for the block cache"},
  };
  for (const Row& row : kRows) {
    if (row.status == status) return row.text;
  }
  return "unknown status";
}

#endif  // CLIPPARSER_FOUNDATION_STATUS_H
