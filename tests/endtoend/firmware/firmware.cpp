// Something to write: a program linked like a board's firmware, with a vector table at address 0,
// code behind it, and tables further up with a gap between. Nobody runs it.

namespace {

using Handler = void (*)();

volatile unsigned counter;

constexpr unsigned TABLE_SIZE = 1500;

struct Table {
    unsigned short values[TABLE_SIZE];
};

constexpr Table makeTable() {
    Table table{};
    unsigned state = 99;
    for (unsigned short& value : table.values) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<unsigned short>(state >> 16);
    }
    return table;
}

} // namespace

extern const Table firmwareTable;
[[gnu::section(".tables"), gnu::used]] const Table firmwareTable = makeTable();

extern "C" [[gnu::used]] void firmwareMain() {
    for (;;) {
        counter = counter * 3U + firmwareTable.values[counter % TABLE_SIZE];
    }
}

extern const Handler firmwareVectors[];
[[gnu::section(".vectors"), gnu::used]] const Handler firmwareVectors[] = {
    firmwareMain, firmwareMain, firmwareMain, firmwareMain};
