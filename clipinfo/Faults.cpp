#include "clipinfo/Faults.h"

#include <exception>
#include <iostream>
#include <new>

#include "clipinfo/Text.h"

std::string FaultOf(const std::function<void()>& action) {
  try {
    action();
    return {};
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& error) {
    return error.what();
  } catch (const char* error) {  // the library's
    return Escaped(error);
  }
}

void PrintFault(std::ostream& out, const std::string& path, const std::string& fault) {
  out << "clipinfo: " << Escaped(path) << ": " << fault << '\n';
}

int RunOnClip(const std::string& path, const std::function<void()>& action) {
  std::string fault = FaultOf(action);
  if (!std::cout.flush() && fault.empty()) fault = "standard output cannot be written";
  if (fault.empty()) return kExitOK;
  PrintFault(std::cerr, path, fault);
  return kExitFailed;
}
