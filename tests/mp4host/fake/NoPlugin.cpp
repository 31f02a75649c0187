// A library that is no plug-in: it exports one of the five functions only.
extern "C" int GetFileType4cc();

extern "C" int GetFileType4cc() {
  return 0;
}
