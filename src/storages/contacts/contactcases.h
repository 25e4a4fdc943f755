// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/**
 * Where a contact of a folder can stand between store, mapping and server, and what follows from it.
 *
 * A reply is written to the store first, then to the mapping, and its key comes last. An interruption leaves
 * contacts without a row, and the server sends them again under the old key, or has deleted them meanwhile.
 * Start, query for local changes and replies all decide by this one table.
 */
namespace ContactCases {

struct State
{
    /** The contact names the server identifier that it came with. */
    bool hasOrigin;
    /** The mapping has a row of its folder for it. */
    bool hasRow;
    /** The store lists it as added or changed by the user. */
    bool isEdited;
};

enum class Moment {
    Start, ///< the storage opens the store
    Query, ///< local changes are looked for
    Named, ///< a reply brings the contact
    AllReceived, ///< the server has nothing more to send of the folder
};

enum class Action {
    Leave,
    /** The origin is written into the contact. */
    Sign,
    /** The contact leaves the store. */
    Remove,
    /** The origin is taken from the contact: it is the user's own, and goes up as a new one. */
    Disown,
    UploadAsNew,
    UploadAsChange,
    /** Nothing is sent until the server has named the contact, or sent everything. */
    Await,
    /** The server's details replace those of the contact. */
    Overwrite,
    /** The contact gets its row and keeps the user's details, which go up as a change. */
    MapAsItIs,
};

Action action(Moment moment, const State &state);

} // namespace ContactCases
