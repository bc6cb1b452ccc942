// A filled sample of every message in the list, with values that could really stand there.
#pragma once

#include <string>

#include "messages/ASMessages.h"

namespace kq {

#define KQ_NO_FIELD(kind, name, meaning)
#define KQ_DECLARE(channel, type, purpose, fields) void FillSample(type& sample);
KQ_AS_MESSAGES(KQ_DECLARE, KQ_NO_FIELD)
#undef KQ_DECLARE
#undef KQ_NO_FIELD

template <class T>
T Sample() {
    T sample;
    FillSample(sample);
    return sample;
}

}  // namespace kq
