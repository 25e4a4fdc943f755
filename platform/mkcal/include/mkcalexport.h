// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

#ifdef MKCAL_BUILD
#define MKCAL_EXPORT Q_DECL_EXPORT
#else
#define MKCAL_EXPORT Q_DECL_IMPORT
#endif
