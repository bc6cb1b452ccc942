// The host's application object: any automation object, asked for its properties by name.
#pragma once

#include <memory>
#include <oaidl.h>

#include <kqappsession/AppObject.h>

#include "automation/Ptr.h"

namespace kq::automation {

// Null for Nothing. A property that fails counts as one that is not there.
std::shared_ptr<AppObject> AppObjectOf(Ptr<IDispatch> object);

}  // namespace kq::automation
