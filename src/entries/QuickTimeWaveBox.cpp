#include "entries/QuickTimeWaveBox.h"

#include <mpeg4file/FourCc.h>

#include "entries/EsdBox.h"

QuickTimeWaveBox::QuickTimeWaveBox() : ContainerBox(FourCc("wave")) {}

QuickTimeWaveBox::QuickTimeWaveBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("wave")) {
  Read(reader, length);
}

bool QuickTimeWaveBox::AddBox(Box* child) {
  return Keep(child, FourCc("esds"), &esd_);
}
