int corlune_test_first(void) { return 11; }
