// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrdersForm.h"

#include "examples/orders/window/OrderHeadForm.h"
#include "examples/orders/window/OrderIcons.h"
#include "examples/orders/window/OrderPage.h"
#include "general/SessionValues.h"
#include "platform/core/Cursor.h"

#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize StartSize(1240, 780);
constexpr int PicturePlace = 3; // of its column among those of items

QString ModeName(TDataSetState state)
{
    return state == dsInsert ? u"新增"_s : state == dsEdit ? u"修改"_s : u"浏览"_s;
}

} // namespace

TOrdersForm::TOrdersForm(TDBDFile &design, TDBSession &session) : FData(design, session), FActions(this)
{
    SetName(u"OrdersForm"_s);
    SetCaption(u"订单管理"_s);
    SetIcon(OrderIcon(oiOrders));
    SetPosition(poScreenCenter);
    SetSize(StartSize);
    MakePages();
    MakeBars();
    MakeStatusBar();
    ConnectActions();
    FHeadForm = new TOrderHeadForm(FData, this);

    const THourGlass wait;
    FData.Open();
    for (int column = 0; column < FItemGrid->ColumnCount(); ++column)
        if (FItemGrid->Columns(column)->FieldName() == u"Picture")
            FItemGrid->MoveColumn(column, PicturePlace);
    ShowEntering();
    ShowPage();
    FActions.Follow(FData.HeadSource, &FData.LineSource);
}

TOrdersForm::~TOrdersForm()
{
    // NOTE: the grids hang on data sources that go before them.
    FData.OnEntering = nullptr;
    FData.OnLineItem = nullptr;
    for (TDataSource *source :
         {&FData.HeadSource, &FData.LineSource, &FData.ItemSource, &FData.LineItemSource}) {
        source->OnStateChange = nullptr;
        source->OnDataChange = nullptr;
    }
}

// ---- what is seen ---------------------------------------------------------------------

void TOrdersForm::MakePages()
{
    FPages = new QTabWidget(this);
    FPages->setDocumentMode(true);
    setCentralWidget(FPages); // NOTE: first, since the grids put their pictures on the outermost window
    FOrderPage = new TOrderPage(FData, FPages);
    auto *itemPage = new QWidget(FPages);
    auto *itemLayout = new QVBoxLayout(itemPage);
    itemLayout->setContentsMargins(6, 6, 6, 6);
    FItemGrid = new TExDBGrid(itemPage);
    itemLayout->addWidget(FItemGrid);
    FItemGrid->setObjectName(u"ItemGrid"_s);
    FItemGrid->SetReadOnlyFields(u"CateName;UnitName"_s);
    FItemGrid->SetFixedCols(1);
    FItemGrid->SetKeyOptions(FItemGrid->KeyOptions() & ~dgAllowDelete); // by the action, which looks first
    FItemGrid->SetRowLines(3);
    FItemGrid->SetTitleButtons(true);
    FPages->addTab(FOrderPage, OrderIcon(oiOrders), u"订单"_s);
    FPages->addTab(itemPage, OrderIcon(oiItems), u"物料"_s);
    FOrderPage->HeadGrid().SetDataSource(&FData.HeadSource);
    FOrderPage->LineGrid().SetDataSource(&FData.LineSource);
    FItemGrid->SetDataSource(&FData.ItemSource);
    FData.OnEntering = {this, &TOrdersForm::ShowEntering};
    FData.OnLineItem = [this] { FOrderPage->ShowLineItem(); };
    connect(FPages, &QTabWidget::currentChanged, this, [this] { ShowPage(); });
}

void TOrdersForm::MakeBars()
{
    TOrderActions &a = FActions;
    const QList<QList<QAction *>> groups = {{&a.First, &a.Prior, &a.Next, &a.Last},
                                            {&a.Insert, &a.Update, &a.Head, &a.Delete},
                                            {&a.Save, &a.Cancel},
                                            {&a.Refresh, &a.Export},
                                            {&a.AddLine, &a.DeleteLine, &a.Up, &a.Down}};
    QToolBar *bar = addToolBar(u"工具栏"_s);
    bar->setObjectName(u"ToolBar"_s);
    bar->setMovable(false);
    bar->setIconSize(a.Images.Size());
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (const QList<QAction *> &group : groups) {
        if (&group != &groups.first())
            bar->addSeparator();
        bar->addActions(group);
    }
    const auto addMenu = [&](const QString &title, const QList<qsizetype> &parts) {
        QMenu *menu = menuBar()->addMenu(title);
        for (const qsizetype part : parts) {
            if (part != parts.first())
                menu->addSeparator();
            menu->addActions(groups[part]);
        }
        return menu;
    };
    QMenu *file = addMenu(u"文件(&F)"_s, {3});
    file->addSeparator();
    file->addAction(&a.Exit);
    addMenu(u"编辑(&E)"_s, {1, 2});
    addMenu(u"明细(&L)"_s, {4});
    addMenu(u"移动(&M)"_s, {0});
}

void TOrdersForm::MakeStatusBar()
{
    auto *user = new QLabel(u"用户：%1（%2）"_s.arg(AUserCode, AUserGroup));
    FPlace = new QLabel;
    FPlace->setObjectName(u"Place"_s);
    FMode = new QLabel;
    FMode->setObjectName(u"Mode"_s);
    for (QLabel *label : {user, FPlace, FMode}) {
        label->setMargin(3);
        statusBar()->addPermanentWidget(label);
    }
    for (TDataSource *source : {&FData.HeadSource, &FData.ItemSource}) {
        source->OnStateChange = [this](TDataSource *) { ShowState(); };
        source->OnDataChange = [this](TDataSource *, TField *field) {
            if (!field)
                ShowState();
        };
    }
}

void TOrdersForm::ShowState()
{
    TExQuery &rows = Rows();
    // RecordCount would wait for rows that have not been read yet.
    const qsizetype count = rows.FetchedCount();
    const QString place = rows.IsFetched() ? u"第 %1 笔，共 %2 笔"_s : u"第 %1 笔，共 %2 笔以上"_s;
    FPlace->setText(rows.State() == dsInsert ? u"新的一笔，已有 %1 笔"_s.arg(count)
                                             : place.arg(rows.RecNo()).arg(count));
    FMode->setText(u"状态：%1"_s.arg(ModeName(rows.State())));
}

void TOrdersForm::ShowPage()
{
    if (AreOrdersInFront())
        FActions.Follow(FData.HeadSource, &FData.LineSource);
    else
        FActions.Follow(FData.ItemSource, nullptr);
    ShowState();
    ShowEntering();
}

void TOrdersForm::ShowEntering()
{
    FActions.Head.SetEnabled(AreOrdersInFront() && FData.IsEntering());
    if (FOrderPage->LineGrid().GetReadOnly() == FData.IsEntering())
        FOrderPage->ShowEntering();
}

// ---- what is done ---------------------------------------------------------------------

bool TOrdersForm::AreOrdersInFront() const { return FPages->currentWidget() == FOrderPage; }

TExQuery &TOrdersForm::Rows()
{
    return AreOrdersInFront() ? static_cast<TExQuery &>(FData.Heads) : FData.Items;
}

void TOrdersForm::ConnectActions()
{
    TOrderActions &a = FActions;
    a.First.OnExecute = [this](TAction *) { Rows().First(); };
    a.Prior.OnExecute = [this](TAction *) { Rows().Prior(); };
    a.Next.OnExecute = [this](TAction *) { Rows().Next(); };
    a.Last.OnExecute = [this](TAction *) { Rows().Last(); };
    a.Insert.OnExecute = [this](TAction *) { Insert(); };
    a.Update.OnExecute = [this](TAction *) { Update(); };
    a.Head.OnExecute = [this](TAction *) { ChangeHead(); };
    a.Delete.OnExecute = [this](TAction *) { Delete(); };
    a.Save.OnExecute = [this](TAction *) { Save(); };
    a.Cancel.OnExecute = [this](TAction *) { Cancel(); };
    a.Refresh.OnExecute = [this](TAction *) { FData.Refresh(Rows()); };
    a.Export.OnExecute = [this](TAction *) { Rows().ExportToWorkbook(); };
    a.AddLine.OnExecute = [this](TAction *) { FOrderPage->BeginLine(); };
    a.DeleteLine.OnExecute = [this](TAction *) { FOrderPage->LineGrid().DeleteRow(); };
    a.Up.OnExecute = [this](TAction *) { FData.Lines.Move(true); };
    a.Down.OnExecute = [this](TAction *) { FData.Lines.Move(false); };
    a.Exit.OnExecute = [this](TAction *) { Close(); };
    OnCloseQuery = [this](bool &mayClose) { AskToClose(mayClose); };
}

void TOrdersForm::Insert()
{
    if (!AreOrdersInFront())
        return FData.Items.Append();
    TOrderHeadValues values;
    if (!FHeadForm->Enter(values))
        return;
    FData.NewOrder(values);
    FOrderPage->BeginLine();
}

void TOrdersForm::Update()
{
    if (!AreOrdersInFront()) {
        FItemGrid->setFocus();
        return FData.Items.Edit();
    }
    FData.ChangeOrder();
    FOrderPage->LineGrid().setFocus();
}

void TOrdersForm::ChangeHead()
{
    TOrderHeadValues values = FData.Heads.Values();
    if (FData.Heads.State() == dsInsert ? FHeadForm->Enter(values) : FHeadForm->Change(values))
        FData.Heads.SetValues(values);
}

void TOrdersForm::Delete()
{
    if (AreOrdersInFront())
        return FData.DeleteOrder();
    FData.DeleteItem();
}

void TOrdersForm::Save()
{
    if (AreOrdersInFront())
        FData.SaveOrder();
    else
        FData.Items.Post();
}

void TOrdersForm::Cancel()
{
    if (AreOrdersInFront())
        FData.CancelOrder();
    else
        FData.Items.Cancel();
}

void TOrdersForm::AskToClose(bool &mayClose)
{
    mayClose = false;
    FData.Items.CheckBrowseMode();
    FData.LeaveOrder();
    mayClose = true;
}
