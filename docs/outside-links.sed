s#\[([^]]*)\]\((\.\./)?(HYLBasGenerics\.m|HostServices|examples|tests|benchmarks|tools)[^)]*\)#\1#g
