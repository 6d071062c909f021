#include "debugwindow/simpleflow.h"

#include <QStyle>
#include <QWidget>

namespace Zorvan {

namespace {

constexpr int gapPx = 4;

QSize grownBy(QSize size, const QMargins &margins)
{
    return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

} // namespace

SimpleFlow::SimpleFlow(QWidget *parent)
    : QLayout(parent)
{
    setContentsMargins(gapPx, gapPx, gapPx, gapPx);
    setSpacing(gapPx);
}

SimpleFlow::~SimpleFlow() = default;

void SimpleFlow::addItem(QLayoutItem *item)
{
    m_items.emplace_back(item);
    invalidate();
}

int SimpleFlow::count() const
{
    return static_cast<int>(m_items.size());
}

QLayoutItem *SimpleFlow::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem *SimpleFlow::takeAt(int index)
{
    if (itemAt(index) == nullptr)
        return nullptr;
    const auto place = m_items.begin() + index;
    QLayoutItem *const taken = place->release();
    m_items.erase(place);
    invalidate();
    return taken;
}

int SimpleFlow::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    int bottom = 0;
    for (const Place &place : placesIn(width - margins.left() - margins.right()))
        bottom = qMax(bottom, place.rect.y() + place.rect.height());
    return bottom + margins.top() + margins.bottom();
}

QSize SimpleFlow::sizeHint() const
{
    QSize all;
    for (const Place &place : placesIn(QWIDGETSIZE_MAX))
        all = all.expandedTo({place.rect.x() + place.rect.width(), place.rect.y() + place.rect.height()});
    return grownBy(all.expandedTo({0, 0}), contentsMargins());
}

QSize SimpleFlow::minimumSize() const
{
    QSize widest(0, 0);
    for (const auto &item : m_items) {
        if (!item->isEmpty())
            widest = widest.expandedTo(item->minimumSize());
    }
    return grownBy(widest, contentsMargins());
}

void SimpleFlow::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    const QRect inner = rect.marginsRemoved(contentsMargins());
    const Qt::LayoutDirection direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    for (const Place &place : placesIn(inner.width()))
        place.item->setGeometry(QStyle::visualRect(direction, inner, place.rect.translated(inner.topLeft())));
}

std::vector<SimpleFlow::Place> SimpleFlow::placesIn(int width) const
{
    std::vector<Place> places;
    std::size_t rowBegin = 0;
    int x = 0;
    int y = 0;
    int rowHeight = 0;
    const auto endRow = [&] {
        for (; rowBegin < places.size(); ++rowBegin)
            places[rowBegin].rect.translate(0, (rowHeight - places[rowBegin].rect.height()) / 2);
        y += rowHeight + spacing();
        x = 0;
        rowHeight = 0;
    };
    for (const auto &item : m_items) {
        if (item->isEmpty())
            continue;
        QSize size = item->sizeHint();
        size.setWidth(qMax(qMin(size.width(), width), item->minimumSize().width()));
        if (x > 0 && x + size.width() > width)
            endRow();
        places.push_back({item.get(), {QPoint(x, y), size}});
        x += size.width() + spacing();
        rowHeight = qMax(rowHeight, size.height());
    }
    endRow();
    return places;
}

} // namespace Zorvan
