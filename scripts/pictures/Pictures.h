#pragma once

#include "browser/widgets/frmSifarnikKnj.h"
#include "session/Interaction.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace knjige::pictures
{

// Stands in for the operator while a picture is drawn: a dialog goes to the handler
// (rejected without one), a message is noted and gets its default answer.
class Answering final : public Interaction
{
public:
    std::function<int(QDialog&)> onDialog;
    QStringList messages;

    Answer show(const Message& message) override;
    int exec(QDialog& dialog) override;
    QString chooseSaveFile(const FileChoice&) override { return {}; }
    QString chooseOpenFile(const FileChoice&) override { return {}; }
    bool startProgram(const QString&, const QStringList&) override { return false; }
};

// One group of pictures: a fresh demonstration database of 2016 for company 1, fresh
// settings, the built-in host services and the operator above. `failed` is set by
// whatever goes wrong (told on the error output).
class Scene
{
public:
    explicit Scene(const QString& out);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    // The browser of `kind`, opened (mode 0) as operator "Ana" with access level 0.
    std::unique_ptr<browser::frmSifarnikKnj> open(int kind);
    // Runs T-SQL on the database; false (told) when it fails.
    bool exec(const QString& tsql);
    // Saves a picture to the output folder under `name`; false (told) when it fails.
    bool save(const QPixmap& picture, const QString& name);
    bool save(const QImage& picture, const QString& name, int quality = -1);
    QString file(const QString& name) const;
    // False (told) when `ok` is false.
    bool check(bool ok, const QString& what);
    // Tells of the messages shown so far; none were expected.
    void noMessages();

    Answering* person;
    bool failed = false;

private:
    QString m_out;
    QString m_dir;
    std::unique_ptr<Interaction> m_previous;
};

void browsers(Scene& s);
void editors(Scene& s);
void renumbering(Scene& s);
void generator(Scene& s);
void exportDialog(Scene& s);
void printing(Scene& s);

} // namespace knjige::pictures
