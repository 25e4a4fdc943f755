// SPDX-License-Identifier: LGPL-2.1-or-later
// The contact store's extensions are headers without a library; this is the one place that compiles them.
#include <qcontactstatusflags_impl.h>
#include <qtcontacts-extensions_manager_impl.h>
