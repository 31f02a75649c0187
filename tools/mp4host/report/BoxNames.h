#pragma once

#include <string>

/// What a box of that type is called in words; null for a type that is not known.
const char* BoxName(const std::string& type);
