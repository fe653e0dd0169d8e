// SPDX-License-Identifier: GPL-3.0-or-later
// The live page: its files, which are built into the program, and its first state, so that it can
// be read without scripts.
#pragma once

#include "gateway/request.h"
#include "gateway/state.h"

namespace skyhold {

// Of "/" and the files that it asks for; nothing for any other path. A file that the client has, by
// its tag `known`, is not sent again; the page itself, which holds the verdict, always is.
std::optional<Answer> pageAnswer(const QByteArray& path, const QByteArray& known, const View& view);

} // namespace skyhold
