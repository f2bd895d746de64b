// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"

#include <QAction>
#include <QPointer>

namespace Korvane {

class TActionList;

/// Something that the user can do, with all that menus, tool bars and buttons show of it. Its short cut
/// works in the window that owns the action or its list.
class TAction : public QAction
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName STORED false)
    Q_PROPERTY(qint64 Tag READ Tag WRITE SetTag)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(bool Checked READ Checked WRITE SetChecked)
    Q_PROPERTY(bool AutoCheck READ AutoCheck WRITE SetAutoCheck)
    Q_PROPERTY(QString Hint READ Hint WRITE SetHint)
    Q_PROPERTY(QKeySequence ShortCut READ ShortCut WRITE SetShortCut)
    Q_PROPERTY(int ImageIndex READ ImageIndex WRITE SetImageIndex)
    Q_PROPERTY(QString Category READ Category WRITE SetCategory)

public:
    /// Goes into the list if the owner is one.
    explicit TAction(QObject *owner = nullptr);
    ~TAction() override;

    QString Name() const { return objectName(); }
    void SetName(const QString &name) { setObjectName(name); }
    qint64 Tag() const { return FTag; }
    void SetTag(qint64 tag) { FTag = tag; }
    QString Caption() const { return text(); }
    void SetCaption(const QString &caption) { setText(caption); }
    /// Whether it can be executed when it is seen.
    bool Enabled() const { return isVisible() ? isEnabled() : FIsEnabled; }
    void SetEnabled(bool enabled);
    bool Visible() const { return isVisible(); }
    void SetVisible(bool visible) { setVisible(visible); }
    bool Checked() const { return FIsChecked; }
    void SetChecked(bool checked);
    /// Whether each execution changes Checked.
    bool AutoCheck() const { return FAutoCheck; }
    void SetAutoCheck(bool check);
    QString Hint() const { return FHint; }
    void SetHint(const QString &hint);
    QKeySequence ShortCut() const { return shortcut(); }
    void SetShortCut(const QKeySequence &shortCut) { setShortcut(shortCut); }
    /// The picture in the list's Images; -1 is none.
    int ImageIndex() const { return FImageIndex; }
    void SetImageIndex(int index);
    /// A group of actions for those who choose among them.
    QString Category() const { return FCategory; }
    void SetCategory(const QString &category) { FCategory = category; }

    TActionList *ActionList() const { return FList; }
    /// At the end of the list; null takes it out.
    void SetActionList(TActionList *list);

    /// Updates the action, then does it as if the user had chosen it. False if it is not enabled.
    bool Execute();
    /// OnUpdate of the list, then of the action unless that has handled it.
    void Update();
    /// Updates all actions of windows that are seen. The application does so when nothing else is to do.
    static void UpdateAll();

    TEvent<TAction *> OnExecute;
    /// Sets the state anew; comes often.
    TEvent<TAction *> OnUpdate;
    /// Before the hint is shown: the text may be changed, and false keeps it from being shown.
    TEvent<QString &, bool &> OnHint;

    /// The hint to show now; empty for none.
    QString HintToShow();

private:
    friend class TActionList;
    void HandleTriggered();
    void HandleToggled(bool checked);
    void ShowImage();
    bool IsSeen() const;

    TActionList *FList = nullptr;
    QString FHint, FCategory;
    qint64 FTag = 0;
    int FImageIndex = -1;
    bool FIsEnabled = true, FIsChecked = false, FAutoCheck = false;
};

} // namespace Korvane
