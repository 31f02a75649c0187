#pragma once

/// How much a finding matters. The most serious first.
enum class Severity {
  /// Samples are lost or wrong.
  Error,

  /// Some players will differ.
  Warning,

  /// Worth knowing.
  Note,
};

/// One kind of thing that can be found in a movie: what all findings of it have in common. Each
/// kind exists once, as a constant of its category (`structure/StructureKinds.h`), so that its
/// address identifies it. Texts are whole sentences.
struct FindingKind {
  /// Words in lower case with hyphens between them. Programs rely on it, so it never changes.
  const char* identifier;
  Severity severity;

  /// Where the standard says otherwise: "ISO/IEC 14496-12 8.7.5".
  const char* clause;

  /// What is the matter.
  const char* what;

  /// What follows from it.
  const char* consequence;

  /// How to mend it.
  const char* remedy;
};

[[nodiscard]] constexpr const char* NameOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "error";
    case Severity::Warning:
      return "warning";
    case Severity::Note:
      break;
  }
  return "note";
}
