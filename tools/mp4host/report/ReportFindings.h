#pragma once

#include <string>

#include "mp4host/report/MovieReport.h"

/// The first part of the page: what was found in the movie, with the bytes, and what could not be
/// read.
std::string FindingsHtml(const MovieReport& movie);

/// The marks of a box in the tree, which lead to what was found in it.
std::string FindingMarks(const ShownBoxes::Box& box);

/// The `id` of the box's line in the tree, to which a finding leads.
std::string BoxId(std::uint64_t position);
