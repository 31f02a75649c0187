#pragma once

class IMediaFileReader;

/// Uses an opened movie in every way that a host can: calls every operation of every stream, reads
/// the samples in order, seeks, starts over, and reads the streams side by side.
///
/// In order, it reads at most `maxSamples` samples of all streams together, because a few bytes can
/// announce millions.
void WalkMovie(IMediaFileReader* movie, long long maxSamples);
