// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/plain_text.h"
#include "tests/support/as_read.h"
#include "tests/support/qt_printers.h"

#include <QTextDocument>

#include <gtest/gtest.h>

namespace
{

const char *const texts[] = {
    "run.vtc",
    "<b>go</b>.vtc",
    "a < b & c.vtc",
    "&lt;b&gt;.voi",
    "/data/<i>/run.vtc",
    "/data/b & c/x<br>",
    "<unknown>",
    "&amp;",
    "",
};

TEST(ToolTip, shows_a_text_as_it_is_written)
{
    for (const char *text : texts)
        EXPECT_EQ(asRead(asToolTip(QString::fromUtf8(text))), QString::fromUtf8(text));
}

TEST(ToolTip, of_an_ordinary_text_is_that_text)
{
    for (const char *text : {"run.vtc", "/data/sub-01/run 2.vtc", "a & b.vtc", ""})
        EXPECT_EQ(asToolTip(QString::fromUtf8(text)), QString::fromUtf8(text));
}

TEST(RichText, shows_a_text_as_it_is_written)
{
    for (const char *text : texts) {
        QTextDocument document;
        document.setHtml(asRichText(QString::fromUtf8(text)));
        EXPECT_EQ(document.toPlainText(), QString::fromUtf8(text));
    }
}

} // namespace
