#include "shell/widgets/QtTranslations.h"

#include <QLibraryInfo>

namespace yunqi {

QTranslator* InstallQtTranslations(QCoreApplication& app) {
    const QString folders[] = {
        QLibraryInfo::path(QLibraryInfo::TranslationsPath),
        QCoreApplication::applicationDirPath() + QStringLiteral("/translations")};
    for (const QString& folder : folders) {
        auto* translator = new QTranslator(&app);
        if (translator->load(QStringLiteral("qtbase_zh_CN"), folder) &&
            QCoreApplication::installTranslator(translator))
            return translator;
        delete translator;
    }
    return nullptr;
}

}  // namespace yunqi
