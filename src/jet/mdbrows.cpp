#include "jet/mdbrows.h"

void ForEachMdbRow(MdbTableDef* table, const std::function<void(const MdbRowBuffers&)>& row) {
    MdbRowBuffers buffers;
    const size_t bindSize = table->entry->mdb->bind_size;
    buffers.bytes.assign(table->num_cols, std::vector<char>(bindSize + 1));
    buffers.lengths.assign(table->num_cols, 0);
    for (unsigned column = 0; column < table->num_cols; ++column)
        mdb_bind_column(table, int(column) + 1, buffers.bytes[column].data(),
                        &buffers.lengths[column]);
    mdb_rewind_table(table);
    for (unsigned fetched = 0; fetched <= table->num_rows && mdb_fetch_row(table); ++fetched)
        row(buffers);
}
