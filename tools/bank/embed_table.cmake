# Writes the table of factory programs as C++: cmake -DTABLE=FILE -DOUTPUT=FILE -P embed_table.cmake
file(READ "${TABLE}" text)
set(source "#include \"tools/bank/bank_table.h\"\n#include \"tools/bank/retune.h\"\n\nnamespace bank {\n\nconst Bank& builtInFactoryBank() {\n    static const Bank bank = parseTable(R\"TABLE(${text})TABLE\", \"factory_bank.tsv\");\n    return bank;\n}\n\n} // namespace bank\n")
file(WRITE "${OUTPUT}" "${source}")
