// The live page: its files, which are built into the program, and its first state, so that it can
// be read without scripts.
#pragma once

#include "gateway/request.h"
#include "gateway/state.h"

namespace skyhold {

// Of "/" and the files that it asks for; nothing for any other path.
std::optional<Answer> pageAnswer(const QByteArray& path, const View& view);

} // namespace skyhold
