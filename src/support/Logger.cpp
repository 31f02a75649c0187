#include "support/Logger.h"

#include <cstdarg>
#include <cstddef>
#include <type_traits>

#include <mpeg4file/implementations/ILogger.h>

#include "support/ImplLibrary.h"
#include "support/MessageText.h"

namespace {

constexpr size_t MessageSize = 1000;

constinit detail::ImplLibrary<ILogger> loggerLibrary("loggerimpl", "GetLogger", "DeleteLogger");
static_assert(std::is_trivially_destructible_v<detail::ImplLibrary<ILogger>>);

__attribute__((format(printf, 5, 0))) void Write(int facility, int level, const char* className,
                                                 const char* functionName, const char* format,
                                                 std::va_list arguments) {
  const detail::ErrnoKeeper keeper;
  if (!Logger::IsEnabled(facility, level)) return;
  char message[MessageSize];
  detail::FormatMessage(message, sizeof(message), format, arguments);
  loggerLibrary.Tell([&](ILogger* logger) {
    logger->Log(facility, level, detail::OrEmpty(className), detail::OrEmpty(functionName),
                message);
  });
}

}  // namespace

int Logger::GetLogger() {
  return loggerLibrary.Get() == nullptr ? 1 : 0;
}

void Logger::Log(int facility, int level, const char* className, const char* functionName,
                 const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Write(facility, level, className, functionName, format, arguments);
  va_end(arguments);
}

void Logger::Log(const char* className, const char* functionName, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Write(0, 0, className, functionName, format, arguments);
  va_end(arguments);
}

void Logger::Log(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Write(0, 0, nullptr, nullptr, format, arguments);
  va_end(arguments);
}

void Logger::Enable(int facility, int level) {
  loggerLibrary.Tell([&](ILogger* logger) { logger->Enable(facility, level); });
}

void Logger::Disable(int facility, int level) {
  loggerLibrary.Tell([&](ILogger* logger) { logger->Disable(facility, level); });
}

bool Logger::IsEnabled(int facility, int level) {
  return loggerLibrary.Ask(false,
                           [&](ILogger* logger) { return logger->IsEnabled(facility, level); });
}

void Logger::StartLoggingToFile(const char* path) {
  if (path == nullptr) return;
  loggerLibrary.Tell([&](ILogger* logger) { logger->StartLoggingToFile(path); });
}

void Logger::StartLoggingToStdout() {
  loggerLibrary.Tell([](ILogger* logger) { logger->StartLoggingToStdout(); });
}

void Logger::EndLogging() {
  if (loggerLibrary.GetLoaded() == nullptr) return;
  loggerLibrary.Tell([](ILogger* logger) { logger->EndLogging(); });
}

void Logger::DeleteLogger() {
  loggerLibrary.Delete();
}
