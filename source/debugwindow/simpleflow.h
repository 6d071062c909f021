#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace Zorvan {

/// Places its items from left to right and begins a new row where the next one does not fit. A row is as high
/// as its tallest item; the others stand in its middle. Right to left where people read so.
class SimpleFlow : public QLayout
{
public:
    explicit SimpleFlow(QWidget *parent = nullptr);
    ~SimpleFlow() override;

    void addItem(QLayoutItem *item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    /// All items on one row.
    [[nodiscard]] QSize sizeHint() const override;
    /// As wide as the widest item.
    [[nodiscard]] QSize minimumSize() const override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    void setGeometry(const QRect &rect) override;

private:
    struct Place
    {
        QLayoutItem *item;
        QRect rect;
    };
    [[nodiscard]] std::vector<Place> placesIn(int width) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};

} // namespace Zorvan
