#pragma once

#include "prepare/carry/revision.h"

namespace folioweld {

/// Gives the new catalog one form with the fields of all documents. Fields of a later document are renamed
/// where a document before it uses their names, and get what they inherited from their own form. Tells which
/// documents have signatures, which are not valid in a joined file. Changes nothing where only the first
/// document has a form.
void CarryForms(Revision& revision);

}  // namespace folioweld
