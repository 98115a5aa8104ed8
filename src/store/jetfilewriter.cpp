#include "store/jetfilewriter.h"

#include "jet/jet.h"
#include "toolkit/vb/vberror.h"

namespace {

class FileJetWriter : public JetWriter {
  public:
    explicit FileJetWriter(const QString& path) : writer_(path) {}

    void Apply(const JetRowChange& change) override {
        // The store undoes a change in its copy on the program's own error object.
        try {
            Write(change);
        } catch (const jet::WriteError& error) {
            throw VbError(error.Number, error.Description);
        }
    }

    void BeginUnit() override { writer_.BeginUnit(); }

    void EndUnit(bool keep) override {
        try {
            writer_.EndUnit(keep);
        } catch (const jet::WriteError& error) {
            throw VbError(error.Number, error.Description);
        }
    }

  private:
    void Write(const JetRowChange& change) {
        switch (change.kind) {
            case JetRowChange::Added:
                writer_.AppendRow(change.table, Values(change, change.after));
                break;
            case JetRowChange::Changed:
                writer_.ChangeRow(change.table,
                                  writer_.FindRow(change.table, Values(change, change.before)),
                                  Values(change, change.after));
                break;
            case JetRowChange::Deleted:
                throw jet::WriteError(jet::kErrorUnsupported,
                                      "Rows of table " + change.table +
                                          " cannot be deleted; this writer adds and changes rows "
                                          "only.");
        }
    }

    std::vector<QVariant> Values(const JetRowChange& change, const QVariantList& values) {
        QVariantHash named;
        for (qsizetype i = 0; i < change.columns.size() && i < values.size(); ++i)
            named.insert(change.columns[i], values[i]);
        return writer_.ValuesByName(change.table, named);
    }

    jet::Writer writer_;
};

}  // namespace

ScopedJetFileWriter::ScopedJetFileWriter() {
    SetJetWriterFactory([](const QString& path) -> std::unique_ptr<JetWriter> {
        try {
            return std::make_unique<FileJetWriter>(path);
        } catch (const jet::WriteError& error) {
            throw VbError(error.Number, error.Description);
        }
    });
}

ScopedJetFileWriter::~ScopedJetFileWriter() {
    SetJetWriterFactory({});
}
