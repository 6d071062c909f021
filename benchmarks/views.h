#pragma once

/// Views that show lines as they come: the library's and those that Qt has for it. GUI thread.

#include "debugwindow/protocolwidget.h"

#include <QAbstractListModel>
#include <QListView>
#include <QPlainTextEdit>

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Lines of 80 to 120 bytes with line feeds between them.
std::string linesFrom(int first, int count);

/// Calls \a append with parts of 1000 different lines until so many are through.
void fill(int lines, const std::function<void(const std::string &part)> &append);

/// A view whose lines come as Latin-1 bytes with line feeds between them.
class LineView
{
public:
    LineView() = default;
    virtual ~LineView() = default;
    LineView(const LineView &) = delete;
    LineView &operator=(const LineView &) = delete;

    [[nodiscard]] virtual const char *name() const = 0;
    [[nodiscard]] virtual QAbstractScrollArea &widget() = 0;
    virtual void append(const std::string &lines) = 0;
    /// Scrolls to the last line; the message view does so by itself.
    virtual void follow() {}
    /// The oldest lines make room for new ones; 0: none does.
    virtual void keep(int lines) = 0;

    /// In a fixed size and font.
    void show();
};

class MessageView final : public LineView
{
public:
    MessageView() { keep(0); }
    [[nodiscard]] const char *name() const override { return "message view"; }
    [[nodiscard]] Zorvan::QProtocolWidget &widget() override { return m_view; }
    void append(const std::string &lines) override { m_view.appendText(std::string_view(lines)); }
    void keep(int lines) override { m_view.buffer().setMaximumLineCount(static_cast<std::uint32_t>(lines)); }

private:
    Zorvan::QProtocolWidget m_view;
};

/// Without wrapping and history.
class TextView final : public LineView
{
public:
    TextView();
    [[nodiscard]] const char *name() const override { return "QPlainTextEdit"; }
    [[nodiscard]] QAbstractScrollArea &widget() override { return m_view; }
    void append(const std::string &lines) override;
    void follow() override;
    void keep(int lines) override { m_view.setMaximumBlockCount(lines); }

private:
    QPlainTextEdit m_view;
};

/// A list of strings; more than one can be put in and taken out at a time.
class StringsModel final : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex &) const override { return static_cast<int>(m_lines.size()); }
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(m_lines[index.row()]) : QVariant();
    }
    void append(const QStringList &lines);
    void keepLast(int lines);

private:
    QStringList m_lines;
};

/// With rows of one height.
class ListView final : public LineView
{
public:
    ListView();
    [[nodiscard]] const char *name() const override { return "QListView"; }
    [[nodiscard]] QAbstractScrollArea &widget() override { return m_view; }
    void append(const std::string &lines) override;
    void follow() override;
    void keep(int lines) override { m_kept = lines; }

private:
    int m_kept = 0;
    StringsModel m_model;
    QListView m_view;
};

} // namespace bench
