// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/** The comparisons that keys can ask for. */
namespace QMailDataComparator {
enum EqualityComparator { Equal, NotEqual };
enum InclusionComparator { Includes, Excludes };
enum RelationComparator { LessThan, LessThanEqual, GreaterThan, GreaterThanEqual };
enum PresenceComparator { Present, Absent };
} // namespace QMailDataComparator
