// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/uniqueidgenerationusecase.h"

UniqueIdGenerationUseCase::UniqueIdGenerationUseCase(QObject *parent)
    : QObject(parent)
{
}
