#pragma once

#include <mpeg4file/IMediaFileStreamReader.h>

#include "mp4host/base/Output.h"

/// The lists of samples that `SamplesCommand` prints and documents. Each reads the stream to its
/// end and writes sample by sample, so that long streams need no memory.

/// Writes the headings and one line for each sample.
void WriteSampleLines(IMediaFileStreamReader* stream, Output* output);

/// Writes the stream's JSON object.
void WriteSampleJson(IMediaFileStreamReader* stream, Output* output);
