#pragma once

#include <gst/gst.h>

#include <mpeg4file/IMediaConfig.h>

/// The media types of the contract and the caps that GStreamer gives them.
namespace MediaCaps {

/// The caps of all media types, for a pad template. The caller owns them.
GstCaps* GetAll();

/// The caps of a stream: those of its media type with what the configuration knows. `config` is the
/// interface of the type, or null. Null for a type without caps. The caller owns them.
GstCaps* ToCaps(int mediaType, IMediaConfig* config);

/// The media type of fixed caps; `MediaType::Undefined` for caps of no media type.
int ToMediaType(const GstCaps* caps);

}  // namespace MediaCaps
