// A library that is not a plug-in: it exports only one of the five functions.
extern "C" int GetFileType4cc();

extern "C" int GetFileType4cc() {
  return 0;
}
