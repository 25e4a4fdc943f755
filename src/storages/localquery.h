// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** How a store answers the question for its local changes. */
enum class LocalQuery {
    Answered, ///< everything that waits for the server was told
    /** The store cannot be asked, or is switched off: no changes go up, and the rest of the sync goes on. */
    StoreSilent,
    /** The mapping cannot be read or written. What it does not tell could pass for new: the sync fails. */
    MappingFailed,
};
