// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

#if defined(QMFCLIENT_BUILD)
#define QMF_EXPORT Q_DECL_EXPORT
#else
#define QMF_EXPORT Q_DECL_IMPORT
#endif
