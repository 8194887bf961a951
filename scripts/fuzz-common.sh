# Shared by the fuzz scripts (sourced): how every fuzz run is started.
# Inputs stay under 4 KB, so the readers' own memory budgets stay far below
# these limits; an input that still reaches them is a finding.
fuzz_limits=(-rss_limit_mb=2048 -malloc_limit_mb=1024 -max_len=4096 -timeout=60 -print_final_stats=0)
# What a run with a fixed seed needs to be the same run every time: Qt's hash
# seed and the addresses fixed (addresses steer a few branches, in the
# allocator and Qt's containers), and no mutations built from the values the
# code compared, which hold addresses, times and paths.
export QT_HASH_SEED=0
fuzz_repeatable=(-use_cmp=0)
fuzz_launch=()
if setarch "$(uname -m)" -R true 2>/dev/null; then
  fuzz_launch=(setarch "$(uname -m)" -R)
fi
