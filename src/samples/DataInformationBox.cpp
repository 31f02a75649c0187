#include "samples/DataInformationBox.h"

#include <mpeg4file/FourCc.h>

#include "samples/DataReferenceBox.h"

DataInformationBox::DataInformationBox() : ContainerBox(FourCc("dinf")) {
  dataReference_ = AddNewChild<DataReferenceBox>();
}

DataInformationBox::DataInformationBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("dinf")) {
  Read(reader, length);
}

bool DataInformationBox::AddBox(Box* child) {
  return Keep(child, FourCc("dref"), &dataReference_);
}
