// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"
#include "easitems/algorithms/appdataparserbase.h"

/**
 * Builds an entry of the global address list from the elements inside Properties.
 *
 * The picture is Base64 text. One that the server does not send as such, that it reports as missing or
 * withheld, or that is far larger than what commands ask for is no picture.
 */
class GalAppDataParser : public AppDataParserBase
{
    Q_OBJECT

public:
    /** Letters of a picture's Base64 text; a multiple of what commands ask for, since not all servers heed
     * it.
     */
    static constexpr int LongestPicture = 1024 * 1024;

    explicit GalAppDataParser(QObject *parent = nullptr);

    GalItem item() const { return mItem; }
    /** Whether nothing was read since the last reset(). */
    bool isEmpty() const { return mIsEmpty; }
    /** Starts the next entry. */
    void reset();

    void onStartElement(uint page, uint token) override;
    void onEndElement(uint page, uint token) override;
    void onContent(uint page, uint token, const QString &text, const QByteArray &raw) override;

private:
    /** False if the element is none of an entry's texts. */
    bool takeText(uint key, const QString &text);
    void takePicture(const QString &text);

    GalItem mItem;
    bool mIsEmpty = true;
    /** Of the picture that is being read; the text may come before it. */
    int mPictureStatus = 0;
    QString mPictureText;
};
