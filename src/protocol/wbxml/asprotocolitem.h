// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

class WbxmlEncoder;

/** Base of every object that knows how to write itself into the body of a request. */
class AsProtocolItem : public QObject
{
    Q_OBJECT

public:
    explicit AsProtocolItem(QObject *parent = nullptr);
    ~AsProtocolItem() override;

    /** Appends this object under the encoder's current node and leaves the cursor where it was. */
    virtual void encode(WbxmlEncoder &encoder) const;
};
