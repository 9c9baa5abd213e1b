#pragma once

#include <QString>

#include "db/DatabaseSession.h"

namespace yunqi {

// Whether Chinese text of a SQL Server arrives as the server holds it: asks
// the database's collation and sets the session's code page of narrow text
// by it (GBK, "GB18030", whatever the collation with asGbk; the driver's own
// conversion for a collation not known here), then reads the names of the
// ticket types and the departments, which the statements match on. A name
// with Latin letters beyond ASCII and no Chinese character is GBK read through
// a Latin label ("支付宝" read as "Ö§¸¶±¦"); such a name, or one that does not
// convert, raises RuntimeError with a description naming the collation and
// the remedy.
void CheckChineseText(DatabaseSession& session, bool asGbk);

// The code page of narrow text under a collation, or empty when not known.
QByteArray CollationCodec(const QString& collation);

// True for text that is GBK bytes read as a Latin code page.
bool LooksMisread(const QString& text);

}  // namespace yunqi
