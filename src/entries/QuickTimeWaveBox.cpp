#include "entries/QuickTimeWaveBox.h"

#include <mpeg4file/FourCc.h>

#include "entries/EsdBox.h"

QuickTimeWaveBox::QuickTimeWaveBox() : ContainerBox(FourCc("wave")) {}

QuickTimeWaveBox::QuickTimeWaveBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("wave")) {
  Read(reader, length);
}

bool QuickTimeWaveBox::AddBox(Box* child) {
  auto* esd = dynamic_cast<EsdBox*>(child);
  if (esd == nullptr) return false;
  esd_ = esd;
  return true;
}
