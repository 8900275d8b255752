namespace Plugin { int ModelBuilderVersion() { return 1; } }
