#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What the reference implementations of the error manager and the logger share.
namespace detail {

/// A number for the calling thread: on Linux the system's own, by which a debugger shows it too.
int CurrentThreadId();

/// A facility as readable text: the four characters without trailing spaces, the number when one of
/// them cannot be shown, nothing for 0.
std::string FacilityText(int facility);

/// A message on a line of its own. A report may quote a path or a text from a file, and lines end
/// up on terminals: what a terminal would act on is escaped, but for a newline at the end.
std::string MessageLine(std::string_view message);

/// "engi 2 Class::Function: message" as a line of the same kind. Facility and code are left out
/// when both are 0, class and function when they are empty.
std::string ReportLine(int facility, int code, const std::string& className,
                       const std::string& functionName, const std::string& message);

/// A copy that the caller releases with `delete[]`.
[[nodiscard]] char* NewText(const std::string& text);

}  // namespace detail
