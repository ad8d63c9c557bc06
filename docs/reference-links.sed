# Links of a page that the reference cannot follow: into folders that it does not hold, and to
# headings.
s#\[([^]]*)\]\((\.\./)?(HYLBasGenerics\.m|HostServices|examples|tests|benchmarks|tools)[^)]*\)#\1#g
s#\[([^]]*)\]\(\#[^)]*\)#\1#g
s#(\]\([^)]*\.md)\#[^)]*\)#\1)#g
s#\[([^]]*)\]\(\.\./(HostInterfaces|ProtectedInterfaces)\)#\1#g
