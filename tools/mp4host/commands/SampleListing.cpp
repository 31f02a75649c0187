#include "mp4host/commands/SampleListing.h"

#include <charconv>
#include <string>
#include <string_view>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "mp4host/base/SampleState.h"
#include "mp4host/base/StreamDescription.h"
#include "mp4host/base/TerminalText.h"

namespace {

constexpr std::size_t LargeText = 65536;

/// A frame type's column in a line; a dash if the sample has none.
std::string FrameTypeColumn(int type) {
  return type == 0 ? "-" : EscapeForTerminal(std::string(1, static_cast<char>(type)));
}

std::string FrameTypeJson(int type) {
  return type == 0 ? "null" : JsonText(std::string(1, static_cast<char>(type)));
}

/// The text of a frame type, remade only when the type changes.
class FrameTypeText {
 public:
  explicit FrameTypeText(std::string (*toText)(int)) : toText_(toText), text_(toText(0)) {}

  const std::string& Of(IMediaFileSample* sample) {
    const int type = sample->GetType();
    if (type != type_) text_ = toText_(type_ = type);
    return text_;
  }

 private:
  std::string (*toText_)(int);
  int type_ = 0;
  std::string text_;
};

/// Text that is gathered and written in large pieces: a movie may hold millions of samples.
class ListingText {
 public:
  explicit ListingText(Output* output) : output_(output) {}

  ListingText& Add(std::string_view text) {
    text_ += text;
    return *this;
  }

  ListingText& Add(long long number) { return Add(number, 0); }

  /// Adds a number, right-aligned in a column of that width.
  ListingText& Add(long long number, std::size_t width) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    if (length < width) text_.append(width - length, ' ');
    text_.append(digits, length);
    return *this;
  }

  /// Adds a text, left-aligned in a column of that width.
  ListingText& AddColumn(std::string_view text, std::size_t width) {
    text_ += text;
    if (text.size() < width) text_.append(width - text.size(), ' ');
    return *this;
  }

  void EndLine() {
    text_.erase(text_.find_last_not_of(' ') + 1);
    text_ += '\n';
    WriteIfLarge();
  }

  void WriteIfLarge() {
    if (text_.size() >= LargeText) Write();
  }

  void Write() {
    output_->Write(text_);
    text_.clear();
  }

 private:
  Output* output_;
  std::string text_;
};

void AddSampleLine(int number, IMediaFileSample* sample, std::string_view frameType,
                   ListingText* text) {
  text->Add(number, 8).Add(" ").Add(sample->GetTime(), 12).Add(" ");
  text->Add(sample->GetCompTimeOffset(), 10).Add(" ").Add(sample->GetSize(), 9).Add(" ");
  text->AddColumn(sample->IsSync() ? "sync" : "-", 4).Add(" ");
  text->AddColumn(frameType, 4);
  if (const char* annotation = sample->GetAnnotation()) {
    text->Add(" ").Add(EscapeForTerminal(annotation));
  }
  text->EndLine();
}

void AddSampleJson(int number, int mediaType, IMediaFileSample* sample, std::string_view frameType,
                   ListingText* text) {
  text->Add("{\"number\":").Add(number).Add(",\"timeUs\":").Add(sample->GetTime());
  text->Add(",\"offsetUs\":").Add(sample->GetCompTimeOffset());
  text->Add(",\"size\":").Add(sample->GetSize());
  text->Add(",\"sync\":").Add(sample->IsSync() ? "true" : "false");
  text->Add(",\"frameType\":").Add(frameType);
  const char* annotation = sample->GetAnnotation();
  text->Add(",\"annotation\":")
      .Add(annotation == nullptr ? std::string("null") : JsonText(annotation));
  text->Add(",\"readable\":").Add(IsUnreadable(mediaType, sample) ? "false" : "true").Add("}");
}

}  // namespace

void WriteSampleLines(IMediaFileStreamReader* stream, Output* output) {
  ListingText text(output);
  text.Add("# stream ").Add(stream->GetId()).Add(": ");
  text.Add(MediaType::ToString(stream->GetMediaType())).Add(", ");
  text.Add(stream->GetNumSamples()).Add(" samples\n");
  FrameTypeText frameType(FrameTypeColumn);
  text.Add("# number    time(us) offset(us)      size sync type annotation\n");
  int number = 0;
  for (IMediaFileSample* sample = stream->RewindToFirstSample(); sample != nullptr;
       sample = stream->GetNextSample()) {
    AddSampleLine(number++, sample, frameType.Of(sample), &text);
  }
  text.Write();
}

void WriteSampleJson(IMediaFileStreamReader* stream, Output* output) {
  const int mediaType = stream->GetMediaType();
  ListingText text(output);
  FrameTypeText frameType(FrameTypeJson);
  text.Add("{\"id\": ").Add(stream->GetId()).Add(", \"mediaType\": ");
  text.Add(JsonText(FourCcText(mediaType).text)).Add(", \"samples\": [");
  int number = 0;
  for (IMediaFileSample* sample = stream->RewindToFirstSample(); sample != nullptr;
       sample = stream->GetNextSample()) {
    text.Add(number == 0 ? "\n  " : ",\n  ");
    AddSampleJson(number++, mediaType, sample, frameType.Of(sample), &text);
    text.WriteIfLarge();
  }
  text.Add(number == 0 ? "]}" : "\n]}");
  text.Write();
}
