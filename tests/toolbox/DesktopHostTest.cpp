// placeholder while a build runs
