// SPDX-License-Identifier: MIT
#include "platform/forms/ChineseTexts.h"

#include <QCoreApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QTranslator>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

const QHash<QByteArray, QString> &Texts()
{
    static const QHash<QByteArray, QString> texts{
        // buttons
        {"OK", u"确定"_s},
        {"&OK", u"确定(&O)"_s},
        {"Cancel", u"取消"_s},
        {"&Cancel", u"取消(&C)"_s},
        {"&Yes", u"是(&Y)"_s},
        {"Yes to &All", u"全部是(&A)"_s},
        {"&No", u"否(&N)"_s},
        {"N&o to All", u"全部否(&O)"_s},
        {"Abort", u"中止(&A)"_s},
        {"Retry", u"重试(&R)"_s},
        {"Ignore", u"忽略(&I)"_s},
        {"Close", u"关闭"_s},
        {"&Close", u"关闭(&C)"_s},
        {"Save", u"保存"_s},
        {"&Save", u"保存(&S)"_s},
        {"Save All", u"全部保存"_s},
        {"Discard", u"不保存"_s},
        {"Don't Save", u"不保存"_s},
        {"Close without Saving", u"不保存并关闭"_s},
        {"Open", u"打开"_s},
        {"&Open", u"打开(&O)"_s},
        {"Apply", u"应用"_s},
        {"Reset", u"重置"_s},
        {"Restore Defaults", u"恢复默认值"_s},
        {"Help", u"帮助"_s},
        {"Show Details...", u"显示全文…"_s},
        {"Hide Details...", u"隐藏全文…"_s},
        // menus of text fields
        {"&Undo", u"撤消(&U)"_s},
        {"&Redo", u"重做(&R)"_s},
        {"Cu&t", u"剪切(&T)"_s},
        {"&Copy", u"复制(&C)"_s},
        {"&Paste", u"粘贴(&P)"_s},
        {"Delete", u"删除"_s},
        {"Select All", u"全选"_s},
        {"&Select All", u"全选(&A)"_s},
        {"&Step up", u"增加(&S)"_s},
        {"Step &down", u"减少(&D)"_s},
        // windows
        {"&Restore", u"还原(&R)"_s},
        {"&Move", u"移动(&M)"_s},
        {"&Size", u"大小(&S)"_s},
        {"Mi&nimize", u"最小化(&N)"_s},
        {"Ma&ximize", u"最大化(&X)"_s},
        {"Minimize", u"最小化"_s},
        {"Maximize", u"最大化"_s},
        {"Restore Down", u"还原"_s},
        // file dialogs
        {"Look in:", u"查找范围："_s},
        {"Back", u"后退"_s},
        {"Go back", u"后退"_s},
        {"Forward", u"前进"_s},
        {"Go forward", u"前进"_s},
        {"Parent Directory", u"上一级文件夹"_s},
        {"Go to the parent directory", u"转到上一级文件夹"_s},
        {"Create New Folder", u"新建文件夹"_s},
        {"Create a New Folder", u"新建文件夹"_s},
        {"&New Folder", u"新建文件夹(&N)"_s},
        {"New Folder", u"新建文件夹"_s},
        {"List View", u"列表"_s},
        {"Change to list view mode", u"改为列表"_s},
        {"Detail View", u"详细资料"_s},
        {"Change to detail view mode", u"改为详细资料"_s},
        {"File &name:", u"文件名(&N)："_s},
        {"Directory:", u"文件夹："_s},
        {"Files of type:", u"文件类型："_s},
        {"&Choose", u"选择(&C)"_s},
        {"Find Directory", u"查找文件夹"_s},
        {"Save As", u"另存为"_s},
        {"Directories", u"文件夹"_s},
        {"All Files (*)", u"所有文件 (*)"_s},
        {"&Rename", u"重命名(&R)"_s},
        {"&Delete", u"删除(&D)"_s},
        {"Show ", u"显示 "_s},
        {"Show &hidden files", u"显示隐藏文件(&H)"_s},
        {"Sidebar", u"侧栏"_s},
        {"List of places and bookmarks", u"位置和书签"_s},
        {"Files", u"文件"_s},
        {"My Computer", u"计算机"_s},
        {"Computer", u"计算机"_s},
        {"Drive", u"驱动器"_s},
        {"Name", u"名称"_s},
        {"Size", u"大小"_s},
        {"Type", u"类型"_s},
        {"Kind", u"类型"_s},
        {"Date Modified", u"修改日期"_s},
        {"File Folder", u"文件夹"_s},
        {"Folder", u"文件夹"_s},
        {"File", u"文件"_s},
        {"%1 File", u"%1 文件"_s},
        {"%1\nFile not found.\nPlease verify the correct file name was given.",
         u"%1\n找不到文件，请检查文件名是否正确。"_s},
        {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
         u"%1\n找不到文件夹，请检查文件夹名是否正确。"_s},
        {"%1 already exists.\nDo you want to replace it?", u"%1 已经存在，要替换它吗？"_s},
        {"'%1' is write protected.\nDo you want to delete it anyway?", u"“%1”是只读的，确实要删除它吗？"_s},
        {"Are you sure you want to delete '%1'?", u"确实要删除“%1”吗？"_s},
        {"Could not delete directory.", u"无法删除文件夹。"_s},
    };
    return texts;
}

class TChineseTexts : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        // The application's own classes have their own texts.
        return context != nullptr && context[0] == 'Q' && sourceText != nullptr ? ChineseText(sourceText)
                                                                                : QString();
    }
};

} // namespace

QString ChineseText(const char *sourceText) { return Texts().value(QByteArray(sourceText)); }

void InstallChineseTexts(QCoreApplication &application)
{
    auto *all = new QTranslator(&application);
    if (all->load(u"qtbase_zh_CN"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(all);
    else
        delete all;
    QCoreApplication::installTranslator(new TChineseTexts(&application)); // the last one is asked first
}

} // namespace Korvane
