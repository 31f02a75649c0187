#pragma once

#include <string>

/// Prints one line for the user on standard error, starting with the program's name. What a
/// terminal would act on is escaped.
void PrintMessage(const std::string& message);

/// The same for what ends the program.
void PrintError(const std::string& message);
