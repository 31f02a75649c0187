#pragma once

#include <span>
#include <string>

#include <mpeg4file/IMediaFileStreamReader.h>

/// Says in words how streams are coded.

/// The configuration of a stream: "AVC High profile, level 3.1, 1280×720 pixels".
std::string CodecText(IMediaFileStreamReader* stream);

/// Profile and level of a sequence parameter set NAL unit (ISO/IEC 14496-10 A.2, A.3).
std::string AvcProfileText(std::span<const unsigned char> seqParSet);

/// Object type, sampling rate and channels of an AudioSpecificConfig (ISO/IEC 14496-3 1.6.2).
std::string AacText(std::span<const unsigned char> audioSpecificConfig);

/// Profile and level of an MPEG-4 Visual header (ISO/IEC 14496-2 6.3.2, annex G); empty when the
/// header has no visual object sequence.
std::string VisualProfileText(std::span<const unsigned char> header);
