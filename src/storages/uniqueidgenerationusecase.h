// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/** A place for identifiers that are to be made here; contacts get theirs from the server and the store. */
class UniqueIdGenerationUseCase : public QObject
{
    Q_OBJECT

public:
    explicit UniqueIdGenerationUseCase(QObject *parent);
};
