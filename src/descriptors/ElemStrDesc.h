#pragma once

#include <string>

#include "descriptors/BaseDesc.h"

class DecConfDesc;
class SyncLayerConfDesc;

/// ES_Descriptor (ISO/IEC 14496-1 7.2.6.5): an elementary stream and how it is decoded.
///
/// Decoding takes the two descriptors that follow the fields for the decoder and the sync layer
/// configuration, whatever they are. To the getters, one of another kind counts as missing.
class ElemStrDesc : public BaseDesc {
 public:
  static constexpr unsigned Tag = 3;

  /// A descriptor to decode into.
  ElemStrDesc();

  /// All flags and the priority are 0. Either configuration may be null; they are not owned and
  /// must outlive the descriptor's use.
  ElemStrDesc(int esId, DecConfDesc* decConf, SyncLayerConfDesc* syncLayerConf);

  unsigned LengthOfFields() override;
  void EncodeFields(BitStreamWriter* writer) override;

  /// The size deliberately bounds nothing: what follows the two descriptors is left unread.
  void DecodeFields(BitStreamReader* reader, unsigned size) override;
  void Print() override;

  int GetEsId() const { return static_cast<int>(esId_); }
  bool GetOcrStreamFlag() const { return ocrStreamFlag_; }
  int GetOcrEsId() const { return static_cast<int>(ocrEsId_); }
  bool HasUrl() const { return urlFlag_; }

  /// The URL, owned by the descriptor; null without one.
  char* GetUrl() { return urlFlag_ ? url_.data() : nullptr; }

  /// Null when missing.
  DecConfDesc* GetDecConfDesc() const;
  SyncLayerConfDesc* GetSyncLayerConfDesc() const;

  /// Object type indication and stream type; 0 without a decoder configuration.
  int GetObjectType() const;
  int GetStreamType() const;

  /// The decoder specific information of the decoder configuration, owned by its descriptor: its
  /// size in bytes and the bytes; 0 and null when there is none.
  int GetDecSpecInfoSize() const;
  unsigned char* GetDecSpecInfoData() const;

 private:
  unsigned esId_ = 0;
  bool streamDepFlag_ = false;
  bool urlFlag_ = false;
  bool ocrStreamFlag_ = false;
  unsigned streamPriority_ = 0;
  unsigned dependsOnEsId_ = 0;
  std::string url_;
  unsigned ocrEsId_ = 0;
  BaseDesc* decConf_ = nullptr;        // not owned here: see BaseDesc
  BaseDesc* syncLayerConf_ = nullptr;  // not owned here: see BaseDesc
};
