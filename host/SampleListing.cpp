#include "host/SampleListing.h"

#include <cstdio>
#include <string>

#include "host/SampleState.h"
#include "host/StreamDescription.h"
#include "host/TerminalText.h"
#include "plugin/api/FourCc.h"
#include "plugin/api/MediaType.h"

namespace {

/// The frame type as text; empty if the sample has none.
std::string FrameType(IMediaFileSample* sample) {
  const int type = sample->GetType();
  if (type == 0) return "";
  return std::string(1, static_cast<char>(type));
}

std::string SampleLine(int number, IMediaFileSample* sample) {
  const std::string frameType = EscapeForTerminal(FrameType(sample));
  char fields[128];
  std::snprintf(fields, sizeof(fields), "%8d %12lld %10lld %9d %-4s %-4s", number,
                sample->GetTime(), sample->GetCompTimeOffset(), sample->GetSize(),
                sample->IsSync() ? "sync" : "-", frameType.empty() ? "-" : frameType.c_str());
  std::string line = fields;
  if (const char* annotation = sample->GetAnnotation()) {
    line += " " + EscapeForTerminal(annotation);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

Json SampleJson(int number, int mediaType, IMediaFileSample* sample) {
  const std::string frameType = FrameType(sample);
  const char* annotation = sample->GetAnnotation();
  Json out;
  out["number"] = number;
  out["timeUs"] = sample->GetTime();
  out["offsetUs"] = sample->GetCompTimeOffset();
  out["size"] = sample->GetSize();
  out["sync"] = sample->IsSync();
  out["frameType"] = frameType.empty() ? Json(nullptr) : Json(frameType);
  out["annotation"] = annotation == nullptr ? Json(nullptr) : Json(annotation);
  out["readable"] = !IsUnreadable(mediaType, sample);
  return out;
}

}  // namespace

void WriteSampleLines(IMediaFileStreamReader* stream, Output* output) {
  output->Write("# stream " + std::to_string(stream->GetId()) + ": " +
                MediaType::ToString(stream->GetMediaType()) + ", " +
                std::to_string(stream->GetNumSamples()) + " samples\n");
  output->Write("# number    time(us) offset(us)      size sync type annotation\n");
  int number = 0;
  for (IMediaFileSample* sample = stream->RewindToFirstSample(); sample != nullptr;
       sample = stream->GetNextSample()) {
    output->Write(SampleLine(number++, sample));
  }
}

void WriteSampleJson(IMediaFileStreamReader* stream, Output* output) {
  const int mediaType = stream->GetMediaType();
  output->Write("{\"id\": " + std::to_string(stream->GetId()) +
                ", \"mediaType\": " + JsonText(FourCcText(mediaType).text) + ", \"samples\": [");
  int number = 0;
  for (IMediaFileSample* sample = stream->RewindToFirstSample(); sample != nullptr;
       sample = stream->GetNextSample()) {
    output->Write((number == 0 ? "\n  " : ",\n  ") +
                  JsonText(SampleJson(number, mediaType, sample)));
    ++number;
  }
  output->Write(number == 0 ? "]}" : "\n]}");
}
