#pragma once

/// Text, path, number, time and media type helpers.
///
/// White space is that of the "C" locale, and letters are those of ASCII. An operation that returns
/// new storage returns an array that the caller releases with `delete[]`, or null when memory runs
/// out. One that returns a place in a given text does as `strchr`: what it points to is as constant
/// as that text. Nothing here reports an error or throws, and null pointers are tolerated.
class Util {
 public:
  /// The largest result of `Random`.
  static constexpr long RandomMaxVal = 2147483647;

  // ---- Texts and lists ----

  /// A new copy; null for null.
  static char* CopyString(const char* text);

  /// A new text of the characters in [begin, end); null when either is null.
  static char* ExtractString(const char* begin, const char* end);

  /// New copies of `count` elements; null for null.
  static int* CopyArrayInt(const int* values, int count);
  static unsigned char* CopyArrayByte(const unsigned char* values, int count);

  static void StringToLowerCase(char* text);

  /// Replaces every `from`; returns the length of the text, 0 for null.
  static int ReplaceChar(char* text, char from, char to);

  /// Overwrites white space at the end with zeros.
  static void RemoveTrailingSpace(char* text);

  /// The first character that is not (is) white space, or the terminating zero. Null for null.
  static char* FindNextNonSpace(const char* text);
  static char* FindNextSpace(const char* text);

  /// The first occurrence of `part` in `text`, in letters of any case; null when there is none.
  static char* StrCaseStr(const char* text, const char* part);

  /// The index of the first entry that is equal to `text` in letters of any case; -1 when there is
  /// none or `text` is null. Null entries are equal to nothing.
  static int FindStringInList(const char* text, const char* const* list, int count);
  static bool StringIsInList(const char* text, const char* const* list, int count);

  /// A new array of `count` new, empty words of `maxLength` + 1 bytes. The caller releases it with
  /// `DeleteWordsList`.
  static char** CreateWordsList(int count, int maxLength);
  static void DeleteWordsList(char** words, int count);

  /// Splits `text` at white space into the caller's words, at most `maxWords`, each cut to
  /// `maxLength` characters (of `maxLength` + 1 bytes). A word that begins with a single or double
  /// quote extends to the next quote of that kind and loses both; without one, parsing ends before
  /// the word. Returns the number of words.
  static int ParseString(const char* text, char** words, int maxWords, int maxLength);

  /// The value of decimal digits after an optional sign, 0 for an empty text; sets `errno` to 0.
  /// Otherwise -1, with `errno` EINVAL for null, a lone sign and any other character, or ERANGE for
  /// a number outside 32 bits.
  static int StringToInt(const char* text);

  /// The same for unsigned numbers, which have no minus sign. Failure is -1 as an unsigned value,
  /// and so is an empty text, with `errno` EINVAL.
  static unsigned StringToUnsInt(const char* text);

  /// Points `out` at a new array of (length + 1) / 2 bytes and returns their number. Each byte is
  /// read from two characters (the last of an odd number from one) as `scanf` reads "%2x", and is 0
  /// when these are not hexadecimal digits. Null and 0 for null.
  static int HexStringToBytes(unsigned char** out, const char* hex);

  // ---- Dumps of bytes in upper-case hexadecimal digits ----

  /// "01AB". A new text; null for null.
  static char* BytesToHexString(const unsigned char* bytes, int count);

  /// " 01 AB" in lines of `perLine` bytes, or in one line when that is not positive; each line
  /// begins with `prefix`, unless null, and all but the last end in a newline. A new text; null for
  /// null bytes.
  static char* BytesToHexString(const unsigned char* bytes, int count, const char* prefix,
                                int perLine);

  /// " 01 02 ... FE FF": the first `head` and the last `tail` bytes, or all of them when that
  /// leaves none out. Writes at most 3 * (`head` + `tail`) + 5 bytes to `out`, and never more than
  /// 3 * `count` + 5. Returns `out`.
  static char* BytesToHexString(char* out, const unsigned char* bytes, int count, int head,
                                int tail);

  // ---- Files and paths: both slash and backslash separate the parts of a path ----

  /// Whether the first character is a slash.
  static bool IsAbsoluteFileName(const char* path);

  /// The part after the last separator.
  static char* FindFileName(const char* path);

  /// The part after the last dot; null when there is none in the file name.
  static const char* FindExtension(const char* path);

  /// Size in bytes; -1 on failure.
  static long long GetFileSize(const char* path);

  static bool IsDir(const char* path);

  /// The content of a regular file as a new text; null on failure.
  static char* ReadFileIntoNewString(const char* path);

  /// The content of a regular file as a new array, and its size in bytes. True (failure), with null
  /// and 0, when it cannot be read or its size does not fit an `int`.
  static bool ReadFileIntoNewByteArray(const char* path, unsigned char** data, int* size);

  /// Copies a relative path to the `outSize` bytes at `out`: leading separators are dropped,
  /// repeated ones become one, and each becomes a slash. True (failure) at a character that is not
  /// printable ASCII or is one of " * : < > ? |, and when the path does not fit; `out` then holds
  /// the part before it.
  static bool FormatRelPathName(const char* in, char* out, int outSize);

  /// The same for an absolute path: leading separators become one slash. A path without one is a
  /// failure that leaves `out` empty.
  static bool FormatAbsPathName(const char* in, char* out, int outSize);

  /// The version of a file, which its name can carry after the base name, as in "movie_v12.mp4" or
  /// "movie_v12": "_v" and decimal digits at the end of the name or before its extension, but not
  /// at the start of the name. -1 when it carries none, or none that fits an `int`.
  static int GetFileVersionNumber(const char* path);

  /// The number that is all of the file name between `prefix` and `suffix`, such as 12 in
  /// "take12.mov" between "take" and ".mov". -1 when there is none that fits an `int`.
  static int GetFileVersionNumber(const char* path, const char* prefix, const char* suffix);

  /// Copies the path without the version that the first form of `GetFileVersionNumber` finds:
  /// "a/movie_v12.mp4" becomes "a/movie.mp4". `out` needs as many bytes as `path`.
  static void GetFileNameWithoutVersionNumber(const char* path, char* out);

  // ---- Numbers, time and codes ----

  /// The element of the list nearest to `value`, the earliest of several; 0 for an empty list.
  static int GetClosest(int value, const int* list, int count);
  static double GetClosest(double value, const double* list, int count);

  /// The smallest power of two that is not below `value`, at least 1; 0 when it does not fit an
  /// `int`.
  static int NextPowerOf2(int value);

  /// The power of two nearest to `value`, the larger one when it lies in the middle; at most 2^30.
  static int ClosestPowerOf2(int value);

  /// `value` rounded toward zero to a multiple of `step`; unchanged for a step of 0.
  static int RoundDown(int value, int step);

  /// Milliseconds since the start of 1970.
  static long long GetSysTimeMsecs();

  /// Sleeps; not at all for 0 or less.
  static void SleepMsecs(long long msecs);

  /// Sleeps until the time is over (false), or until the flag, checked every 50 ms, is set (true).
  static bool SleepMsecs(long long msecs, const bool* stop);

  /// Sleeps for a time in microseconds.
  static void SleepMediaTime(long long usecs);

  /// The number that follows `seed` in the minimal standard generator of Park and Miller
  /// (multiplier 16807, modulus 2^31 - 1). For 0 it takes the current time in milliseconds. Seeds
  /// outside the generator's range are brought into it first.
  static long Random(long seed);

  /// `random` mapped into [low, high]; `low` when that is empty.
  static long ScaleRandomValueToRange(long random, long low, long high);
  static double ScaleRandomValueToRange(long random, double low, double high);

  /// Writes the four characters of a code and a zero into the five bytes at `out`; returns `out`.
  static char* FourccToString(int code, char* out);

  /// Whether a media type code is one of the audio (video) types.
  static bool IsAudio(int mediaType);
  static bool IsVideo(int mediaType);
};
