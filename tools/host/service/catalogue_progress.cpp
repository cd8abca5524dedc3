#include "tools/host/service/catalogue_progress.h"

#include "tools/host/service/catalogue.h"

namespace tovik_host::service {

namespace {

const int drawing_interval = 50;

} // namespace

ProgressView::ProgressView(terminal::Output& output, bool is_quiet, bool is_terminal,
                           int line_interval)
    : output_(output),
      is_quiet_(is_quiet),
      is_terminal_(is_terminal),
      line_interval_(line_interval)
{
    since_line_.start();
}

ProgressView::~ProgressView()
{
    // With spaces, as not every terminal can clear a line.
    if (shown_width_ > 0)
        output_.write(QStringLiteral("\r%1\r").arg(QString(shown_width_, QLatin1Char(' '))));
}

void ProgressView::show(const CatalogueProgress& progress)
{
    const int interval = is_terminal_ ? drawing_interval : line_interval_;
    const bool is_first = is_terminal_ && shown_width_ == 0;
    if (is_quiet_ || (!is_first && since_line_.elapsed() < interval))
        return;
    since_line_.start();
    const QString text = QStringLiteral("Loading the catalogue: %1 of %2, %3")
                             .arg(progress.groups_loaded)
                             .arg(counted(progress.groups_known, QStringLiteral("group")),
                                  counted(progress.items, QStringLiteral("item")));
    if (!is_terminal_) {
        output_.line(text);
        return;
    }
    output_.write(QLatin1Char('\r') + text.leftJustified(shown_width_));
    shown_width_ = qMax(shown_width_, text.size());
}

} // namespace tovik_host::service
