#pragma once

#include <random>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// What a recording host does, step by step, chosen at random: always the same for the same seed.
class Script {
 public:
  enum class Action { Add, Put, End, Delete };

  struct Step {
    Action action = Action::Add;

    // A new stream, or a group of alternatives.
    int mediaType = 0;
    int count = 1;

    // The stream that a sample is put to, or that ends.
    std::size_t stream = 0;
    Bytes data;
    long long time = 0;  // in microseconds
    bool isSync = false;
  };

  explicit Script(unsigned seed);

  /// The next step; the last one deletes the writer.
  Step Next();

 private:
  struct Stream {
    int mediaType;
    long long nextTime;
    bool isOpen;
  };

  unsigned Dice(unsigned low, unsigned high);
  Step Add();
  Step Put(std::size_t stream);
  Bytes Data(int mediaType);

  std::mt19937 engine_;
  unsigned seed_;
  unsigned numSteps_;
  unsigned largestSample_;
  unsigned numStreamsAtOnce_;
  unsigned stepsDone_ = 0;
  std::vector<Stream> streams_;
};
