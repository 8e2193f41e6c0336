#pragma once

#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"

namespace folioweld {

/// Gives `document` the catalog and the title of the document that it was joined from. Those of the later
/// documents are not in the joined file any more: their objects became roots of page trees, and the
/// information dictionaries were replaced. Raises `NotCarried`; nothing is given then.
void ReadSource(QPDF& source, QPDF& file, CarriedDocument& document);

}  // namespace folioweld
