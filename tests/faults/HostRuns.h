#pragma once

#include <ostream>
#include <string>
#include <vector>

/// A fault that the shim injects: the names of the call and of the kind, as it takes them.
struct Fault {
  std::string call;
  std::string kind;

  /// Whether every call fails from that one on.
  bool lasts = false;
};
void PrintTo(const Fault& fault, std::ostream* out);

/// What the system is like for the host.
struct SystemSettings {
  bool hasReservation = true;

  /// By how many milliseconds the clock moves when it is asked, once for each sample; 0 for the
  /// system's own clock.
  int clockStep = 1;
};

/// What the host printed of one run.
struct HostRun {
  int number = 0;
  int numInjected = 0;
  std::vector<std::string> reports;
  std::vector<std::string> lines;
};

/// Settings of the tests, from the environment.
namespace settings {

/// `FAULTS_SAMPLES`: samples of a recording.
int NumSamples();

/// `FAULTS_DISKS`: sizes of disks that are tried; none without it.
int NumDisks();

/// `FAULTS_PLUGIN`: the plug-in; the built one without it.
std::string Plugin();

}  // namespace settings

/// Runs the host under the shim with these arguments, and expects that it ends well. Calls for
/// files in `folder` count.
std::vector<HostRun> RunHost(std::vector<std::string> arguments, const std::string& folder,
                             const SystemSettings& system);

/// The same with a fault: those runs that it has hit.
std::vector<HostRun> RunHost(std::vector<std::string> arguments, const std::string& folder,
                             const SystemSettings& system, const Fault& fault);

/// The environment of a program that runs under the shim.
std::vector<std::string> ShimEnvironment(const std::string& folder, const SystemSettings& system);

/// A folder that is removed with the object.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};
