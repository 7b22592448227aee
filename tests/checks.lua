-- What the sessions that Neovim plays have in common: check(NAME, WANTED, GOT), which prints what fails, and finish(), which
-- prints the number of checks and leaves.
local checks, failures = 0, 0

local function check(name, wanted, got)
    checks = checks + 1
    if vim.deep_equal(wanted, got) then return end
    failures = failures + 1
    print('FAILED: ' .. name .. '\n  wanted ' .. vim.inspect(wanted) .. '\n  got    ' .. vim.inspect(got) .. '\n')
end

local function finish()
    print(checks .. ' checks, ' .. failures .. ' failed\n')
    vim.cmd(failures == 0 and 'qall!' or 'cquit!')
end

return check, finish
