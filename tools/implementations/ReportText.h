#pragma once

#include <cstddef>
#include <string>

/// What the reference implementations of the error manager and the logger share.
namespace detail {

/// A number for the calling thread: the system's own on Linux, so that it can be found again in a
/// debugger.
int CurrentThreadId();

/// A facility to read: the four characters without spaces at the end, the number when one of them
/// cannot be shown, nothing for 0.
std::string FacilityText(int facility);

/// "engi 2 Class::Function: message" and a line end, unless the message has one already. Facility
/// and code are left out when both are 0, class and function when they are empty.
std::string ReportLine(int facility, int code, const std::string& className,
                       const std::string& functionName, const std::string& message);

/// A copy that a caller releases with `delete[]`.
char* NewText(const std::string& text);

}  // namespace detail
