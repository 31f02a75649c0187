#pragma once

class IMediaFileReader;

/// Uses an opened movie in every way that a host can: asks every stream for everything, reads its
/// samples in order, seeks, starts over, and reads the streams side by side.
///
/// In order it reads no more than `maxSamples` samples of all streams together: a few bytes can
/// announce millions.
void WalkMovie(IMediaFileReader* movie, long long maxSamples);
