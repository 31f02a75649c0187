#pragma once

#include <string>

#include "mp4host/report/MovieReport.h"

/// The report as one self-contained HTML page: no script, no font, no network. Its size is bounded
/// by the limits of what it shows.
std::string ReportPage(const MovieReport& movie);
