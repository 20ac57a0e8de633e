#ifndef CLIPPARSER_CLIPINFO_FAULTS_H
#define CLIPPARSER_CLIPINFO_FAULTS_H

#include <functional>
#include <ostream>
#include <string>

// Exit statuses. A command may give 1 and 2 a meaning of its own, and says so in its help.
constexpr int kExitOK = 0;
constexpr int kExitFailed = 1;  // a clip or an output failed
constexpr int kExitUsage = 2;   // wrong arguments

// Runs an action. What went wrong, in one line; empty when nothing did.
[[nodiscard]] std::string FaultOf(const std::function<void()>& action);

// The one line that tells a fault.
void PrintFault(std::ostream& out, const std::string& path, const std::string& fault);

// Runs an action on one clip that prints to the standard output; tells its fault on the standard error. The exit
// status.
[[nodiscard]] int RunOnClip(const std::string& path, const std::function<void()>& action);

#endif  // CLIPPARSER_CLIPINFO_FAULTS_H
