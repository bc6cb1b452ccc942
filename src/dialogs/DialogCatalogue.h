// All forms, for what concerns every dialog: the document, access keys, renderers' tests.
#pragma once

#include <vector>

#include "forms/Form.h"

namespace kq {

std::vector<const FormRow*> DialogCatalogue();

}  // namespace kq
