#pragma once
#include <QHash>
#include <QIcon>
#include <QObject>
#include <QStringList>

class QAction;
class QDockWidget;
class QLabel;
class QMainWindow;
class QMenu;
class QToolBar;

// The main window's command bar: menus, toolbar, navigation bar and status bar as bands of
// named tools. A tool that stands on several bands is one command, with its own caption and
// on/off flag on each band; every press reaches toolClick with the tool's name.
class CommandBar : public QObject {
    Q_OBJECT
public:
    enum class Kind { MenuBar, ToolBar, NavigationBar, DropDown, StatusBar };

    explicit CommandBar(QMainWindow *owner);

    // Building.
    void defineTool(const QString &name, const QString &caption,
                    const QString &description = QString(), const QString &icon = QString());
    void addBand(const QString &name, const QString &caption, Kind kind);
    // A band inside another: the tools of the navigation bar stand on its child band.
    void addChildBand(const QString &parent, const QString &name);
    // Puts a tool on a band, with the band's own caption for it when one is given. A tool
    // whose drop-down names a band opens that band (menus of the menu bar, tlDel's list).
    void addTool(const QString &band, const QString &tool, const QString &caption = QString(),
                 const QString &dropDown = QString());
    void addSeparator(const QString &band);
    void addPanel(const QString &name, const QString &text = QString(), int stretch = 0);

    // What the routines of the program need.
    QStringList bands() const { return m_bandOrder; }
    QStringList tools(const QString &band) const;
    bool hasTool(const QString &band, const QString &tool) const;
    QAction *tool(const QString &band, const QString &tool) const;
    bool isEnabled(const QString &band, const QString &tool) const;
    void setEnabled(const QString &band, const QString &tool, bool on);
    void setAllEnabled(const QString &band, bool on);
    QString caption(const QString &band, const QString &tool) const;
    void setCaption(const QString &band, const QString &tool, const QString &caption);
    bool isBandVisible(const QString &band) const;
    void setBandVisible(const QString &band, bool visible);
    QString bandCaption(const QString &band) const;
    QString panelText(const QString &panel) const;
    void setPanelText(const QString &panel, const QString &text);
    QMenu *dropDown(const QString &band) const;
    int separatorCount(const QString &band) const;
    // Redoes the layout of the bands (after the navigation bar comes back).
    void recalcLayout();

signals:
    void toolClick(const QString &tool);

private:
    struct ToolDef {
        QString caption;
        QString description;
        QString icon;
    };
    struct Band {
        QString caption;
        Kind kind;
        QStringList tools; // in order; separators as empty names
        QHash<QString, QAction *> actions;
        QMenu *menu = nullptr;
        QToolBar *toolBar = nullptr;
        QDockWidget *dock = nullptr;
    };
    QIcon iconFor(const QString &file, Kind kind) const;

    QMainWindow *m_owner;
    QHash<QString, ToolDef> m_tools;
    QHash<QString, Band> m_bands;
    QStringList m_bandOrder;
    QHash<QString, QLabel *> m_panels;
};

// Builds the bands of the main window and their tools.
void buildMainCommandBar(CommandBar &bar);
