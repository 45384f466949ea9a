def modes_for(path): return ["fix flag", "transcode"]
def broken(*a): return []
