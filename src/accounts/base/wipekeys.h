// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** Where the record of an account says that it is to be wiped, and how far that is; in its global part. */
namespace WipeKeys {

/** A bool. */
inline constexpr char Requested[] = "remote_wipe_requested";

/** One of the texts below; none before the acknowledgement has ended. */
inline constexpr char Stage[] = "remote_wipe_stage";
inline constexpr char StageSignOn[] = "sign-on"; ///< the sign-on service removes the identities
inline constexpr char StageData[] = "data"; ///< everything else goes

} // namespace WipeKeys
