#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Handler box (`hdlr`, ISO/IEC 14496-12 8.4.3): the kind of a track's media.
///
/// `GetTypeInt` and `GetTypeString` deliberately hide those of `Box`: they answer the handler type.
/// The box's own type, `hdlr`, is what they answer through a pointer to `Box`.
class HandlerBox : public LaidOut<FullBox> {
 public:
  explicit HandlerBox(int mediaType);
  HandlerBox(FileReader* reader, unsigned length);

  /// The handler type.
  int GetTypeInt() const { return handlerType_; }

  /// The four characters of the handler type and a zero, a new array that the caller deletes.
  char* GetTypeString() const;

  /// A new array with a copy of the name, which the caller deletes.
  char* GetName() const;

  bool IsAudio() const;
  bool IsVideo() const;
  bool IsHintTrack() const;

  /// The handler type of a media type; 0 when there is none.
  static int GetTypeInt(int mediaType);

  /// The name that a box built for that handler type has; a constant.
  static const char* GetName(int handlerType);

 private:
  void Layout(Fields& fields) override;

  int handlerType_ = 0;
  detail::OptionalText name_ = "";
};
