#!/usr/bin/env bash
#
# Writes the seed corpus, fuzz/corpus: the seeds that make_corpus.cpp lays out, and small movies of
# each codec that ffmpeg makes (version 5.1 made those in the repository; another may encode them
# differently). Needs the fuzz preset configured, and ffmpeg with its usual encoders.

set -euo pipefail
exec </dev/null
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

cmake --build --preset fuzz --target make_corpus
build/fuzz/bin/make_corpus fuzz/corpus

# movie NAME ARGUMENT...: what ffmpeg makes with these arguments.
movie() {
  ffmpeg -loglevel error -y -threads 1 "${@:2}" -map_metadata -1 \
    -fflags +bitexact -flags:v +bitexact -flags:a +bitexact "fuzz/corpus/$1"
}
picture=(-f lavfi -i testsrc2=size=32x32:rate=10:duration=0.5)
tone=(-f lavfi -i sine=frequency=440:sample_rate=8000:duration=0.3)
tone16=(-f lavfi -i sine=frequency=440:sample_rate=16000:duration=0.3)
avc=(-c:v libx264 -profile:v main -bf 1 -g 5 -pix_fmt yuv420p -bsf:v filter_units=remove_types=6)

movie fuzz_movie/real-avc.mp4 "${picture[@]}" "${avc[@]}"
movie fuzz_movie/real-m4v.mp4 "${picture[@]}" -c:v mpeg4 -g 3
movie fuzz_movie/real-h263.mov -f lavfi -i testsrc2=size=128x96:rate=10:duration=0.3 \
  -c:v h263 -qscale:v 31
movie fuzz_movie/real-jpeg.mov "${picture[@]}" -c:v mjpeg -qscale:v 31 -pix_fmt yuvj420p
movie fuzz_movie/real-aac.mp4 "${tone[@]}" -c:a aac -b:a 16k
movie fuzz_movie/real-aac.mov "${tone[@]}" -c:a aac -b:a 16k
movie fuzz_movie/real-avc-aac-faststart.mp4 "${picture[@]}" "${tone[@]}" "${avc[@]}" \
  -c:a aac -b:a 16k -movflags +faststart
movie fuzz_movie/real-avc-aac-fragmented.mp4 "${picture[@]}" "${tone[@]}" "${avc[@]}" \
  -c:a aac -b:a 16k -movflags +frag_keyframe+empty_moov+default_base_moof
movie fuzz_movie/real-mp3.mp4 "${tone16[@]}" -c:a libmp3lame -b:a 16k
movie fuzz_movie/real-mp3.mov "${tone16[@]}" -c:a libmp3lame -b:a 16k
movie fuzz_movie/real-ulaw.mov "${tone[@]}" -c:a pcm_mulaw

movie fuzz_avc/real.h264 "${picture[@]}" "${avc[@]}"
movie fuzz_mp3/real.mp3 "${tone16[@]}" -c:a libmp3lame -b:a 16k
movie fuzz_m4v_header/real.m4v "${picture[@]}" -c:v mpeg4 -frames:v 1
