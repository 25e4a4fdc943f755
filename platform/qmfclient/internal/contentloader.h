// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

class MimeNode;

/** Fills a node that stands for content in the store. Content that cannot be read leaves it empty. */
void loadContent(MimeNode &node);
