#include "CommandBar.h"

#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

CommandBar::CommandBar(QMainWindow *owner) : QObject(owner), m_owner(owner)
{
    setObjectName("acbMain");
}

void CommandBar::defineTool(const QString &name, const QString &caption,
                            const QString &description, const QString &icon)
{
    m_tools.insert(name, ToolDef{caption, description, icon});
}

void CommandBar::addBand(const QString &name, const QString &caption, Kind kind)
{
    Band band;
    band.caption = caption;
    band.kind = kind;
    switch (kind) {
    case Kind::MenuBar:
        m_owner->menuBar()->setObjectName(name);
        break;
    case Kind::ToolBar:
        band.toolBar = new QToolBar(caption, m_owner);
        band.toolBar->setObjectName(name);
        band.toolBar->setIconSize(QSize(24, 24));
        band.toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        m_owner->addToolBar(Qt::TopToolBarArea, band.toolBar);
        break;
    case Kind::NavigationBar:
        band.dock = new QDockWidget(caption, m_owner);
        band.dock->setObjectName(name);
        band.dock->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
        m_owner->addDockWidget(Qt::LeftDockWidgetArea, band.dock);
        break;
    case Kind::DropDown:
        band.menu = new QMenu(caption, m_owner);
        band.menu->setObjectName(name);
        break;
    case Kind::StatusBar:
        m_owner->statusBar()->setObjectName(name);
        break;
    }
    m_bands.insert(name, band);
    m_bandOrder << name;
}

void CommandBar::addChildBand(const QString &parent, const QString &name)
{
    Band &outer = m_bands[parent];
    Band band;
    band.kind = Kind::NavigationBar;
    band.toolBar = new QToolBar(outer.caption, outer.dock);
    band.toolBar->setObjectName(name);
    band.toolBar->setOrientation(Qt::Vertical);
    band.toolBar->setIconSize(QSize(40, 40));
    band.toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    band.toolBar->setMovable(false);
    band.toolBar->setStyleSheet(QStringLiteral("QToolButton { min-width: 96px; padding: 6px; }"));
    outer.dock->setWidget(band.toolBar);
    m_bands.insert(name, band);
    m_bandOrder << name;
}

QIcon CommandBar::iconFor(const QString &file, Kind kind) const
{
    if (file.isEmpty())
        return QIcon();
    const QString size = kind == Kind::NavigationBar ? QStringLiteral("48") : QStringLiteral("24");
    const QString path = QStringLiteral(":/tarvik/icons/%1/%2.png").arg(size, file);
    if (QFile::exists(path))
        return QIcon(path);
    return QIcon::fromTheme(file);
}

void CommandBar::addTool(const QString &bandName, const QString &toolName, const QString &caption,
                         const QString &dropDown)
{
    Band &band = m_bands[bandName];
    const ToolDef def = m_tools.value(toolName);
    const QString text = caption.isEmpty() ? def.caption : caption;
    QAction *action = nullptr;
    if (band.kind == Kind::MenuBar) {
        QMenu *menu = m_bands.value(dropDown).menu;
        menu->setTitle(text);
        action = m_owner->menuBar()->addMenu(menu);
    } else {
        action = new QAction(text, this);
        action->setIcon(iconFor(def.icon, band.kind));
        if (band.kind == Kind::DropDown)
            action->setIconVisibleInMenu(true);
        if (!def.description.isEmpty()) {
            action->setToolTip(def.description);
            action->setStatusTip(def.description);
        }
        connect(action, &QAction::triggered, this, [this, toolName] { emit toolClick(toolName); });
        if (band.menu)
            band.menu->addAction(action);
        else if (band.toolBar)
            band.toolBar->addAction(action);
        if (!dropDown.isEmpty()) {
            action->setMenu(m_bands.value(dropDown).menu);
            if (band.toolBar) {
                if (auto *button = qobject_cast<QToolButton *>(band.toolBar->widgetForAction(action)))
                    button->setPopupMode(QToolButton::MenuButtonPopup);
            }
        }
    }
    action->setObjectName(toolName);
    action->setProperty("band", bandName);
    band.tools << toolName;
    band.actions.insert(toolName, action);
}

void CommandBar::addSeparator(const QString &bandName)
{
    Band &band = m_bands[bandName];
    if (band.menu)
        band.menu->addSeparator();
    else if (band.toolBar)
        band.toolBar->addSeparator();
    band.tools << QString();
}

void CommandBar::addPanel(const QString &name, const QString &text, int stretch)
{
    auto *label = new QLabel(text, m_owner);
    label->setObjectName(name);
    label->setMinimumWidth(120);
    label->setContentsMargins(6, 0, 6, 0);
    m_owner->statusBar()->addPermanentWidget(label, stretch);
    m_panels.insert(name, label);
}

QStringList CommandBar::tools(const QString &band) const
{
    QStringList names;
    for (const QString &t : m_bands.value(band).tools) {
        if (!t.isEmpty())
            names << t;
    }
    return names;
}

int CommandBar::separatorCount(const QString &band) const
{
    return int(m_bands.value(band).tools.count(QString()));
}

bool CommandBar::hasTool(const QString &band, const QString &tool) const
{
    return m_bands.value(band).actions.contains(tool);
}

QAction *CommandBar::tool(const QString &band, const QString &tool) const
{
    return m_bands.value(band).actions.value(tool);
}

bool CommandBar::isEnabled(const QString &band, const QString &name) const
{
    QAction *a = tool(band, name);
    return a && a->isEnabled();
}

void CommandBar::setEnabled(const QString &band, const QString &name, bool on)
{
    if (QAction *a = tool(band, name))
        a->setEnabled(on);
}

void CommandBar::setAllEnabled(const QString &band, bool on)
{
    for (QAction *a : m_bands.value(band).actions)
        a->setEnabled(on);
}

QString CommandBar::caption(const QString &band, const QString &name) const
{
    QAction *a = tool(band, name);
    return a ? a->text() : QString();
}

void CommandBar::setCaption(const QString &band, const QString &name, const QString &caption)
{
    if (QAction *a = tool(band, name))
        a->setText(caption);
}

bool CommandBar::isBandVisible(const QString &name) const
{
    const Band band = m_bands.value(name);
    if (band.dock)
        return !band.dock->isHidden();
    if (band.toolBar)
        return !band.toolBar->isHidden();
    return true;
}

void CommandBar::setBandVisible(const QString &name, bool visible)
{
    const Band band = m_bands.value(name);
    if (band.dock)
        band.dock->setVisible(visible);
    else if (band.toolBar)
        band.toolBar->setVisible(visible);
}

QString CommandBar::bandCaption(const QString &band) const { return m_bands.value(band).caption; }

QString CommandBar::panelText(const QString &panel) const
{
    QLabel *label = m_panels.value(panel);
    return label ? label->text() : QString();
}

void CommandBar::setPanelText(const QString &panel, const QString &text)
{
    if (QLabel *label = m_panels.value(panel))
        label->setText(text);
}

QMenu *CommandBar::dropDown(const QString &band) const { return m_bands.value(band).menu; }

void CommandBar::recalcLayout()
{
    const Band nav = m_bands.value(QStringLiteral("barNavigator"));
    if (nav.dock && nav.dock->isFloating())
        nav.dock->setFloating(false);
    m_owner->updateGeometry();
}
