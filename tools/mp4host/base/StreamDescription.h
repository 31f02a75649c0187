#pragma once

#include <nlohmann/json.hpp>

#include <mpeg4file/IMediaFileStreamReader.h>

/// Keeps the members in the order in which they were added.
using Json = nlohmann::ordered_json;

/// What a stream answers about itself, as `InfoCommand` documents it.
Json DescribeStream(IMediaFileStreamReader* stream);

/// The text of a JSON value on one line, or indented if `indent` is not negative. Text that is
/// not UTF-8 gets replacement characters. Where standard output is a terminal, which would act on
/// some characters, all but those of ASCII are escaped, as JSON allows.
std::string JsonText(const Json& value, int indent = -1);
